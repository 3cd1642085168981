// Double square brackets give one character, counted from 1.
$s:="hello"
ALERT($s[[1]])  // expect: h
ALERT($s[[5]])  // expect: o
ALERT($s[[1+1]])  // expect: e
$i:=3
ALERT($s[[$i]]+$s[[$i+1]]+"!")  // expect: ll!
