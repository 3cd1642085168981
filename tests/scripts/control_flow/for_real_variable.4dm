// Required: an existing real variable keeps a broken start for the first pass, and loses it at the next.
$r:=0.5
For ($r;1.5;3)
  ALERT(String($r))
End For
// expect: 1.5
// expect: 2
// expect: 3
