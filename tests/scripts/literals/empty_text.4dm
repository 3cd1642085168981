// A text may be empty.
$s:=""
ALERT(String(Length($s)))  // expect: 0
ALERT(""+"a"+"")  // expect: a
