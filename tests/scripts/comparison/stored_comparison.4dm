// An assignment takes the truth value of a comparison.
$a:=5
$b:=$a=5
ALERT(Choose($b;"yes";"no"))  // expect: yes
$b:=$a#5
ALERT(Choose($b;"yes";"no"))  // expect: no
