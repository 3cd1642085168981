// Required: a comparison with nothing on its left goes on to compare two empty results, and both errors speak.
// error next: -26 Empty comparison (left)Comparison not possible!
$x:= =1
