// Required: a comparison with nothing on its right goes on to compare the kinds, and both errors speak.
// error next: -25 Empty comparison (right)Wrong type in comparison
$x:=1=
