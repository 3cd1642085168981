// A command without brackets starts an expression like any operand.
$s:=Temporary folder+"x"
ALERT(String(Length($s)-Length(Temporary folder)))  // expect: 1
