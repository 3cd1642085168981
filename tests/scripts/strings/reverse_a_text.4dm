// A text is turned around by its characters.
$s:="stressed"
$r:=""
For ($i;Length($s);1;-1)
  $r:=$r+($s[[$i]])
End For
ALERT($r)  // expect: desserts
