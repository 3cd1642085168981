// A text grows by assignment to itself.
$s:=""
For ($i;1;1000)
  $s:=$s+"a"+"b"
End For
ALERT(String(Length($s)))  // expect: 2000
