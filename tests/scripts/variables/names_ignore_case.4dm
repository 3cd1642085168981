// Names ignore the case of ASCII letters.
abc:=1
ABC:=2
ALERT(String(aBc))  // expect: 2
$Name:="a"
$NAME:=$name+"b"
ALERT($name)  // expect: ab
