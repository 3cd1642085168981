// Plus joins texts.
ALERT("a"+"b")  // expect: ab
ALERT("one"+" "+"two"+" "+"three")  // expect: one two three
$s:="x"
$s:=$s+$s+"y"
ALERT($s)  // expect: xxy
