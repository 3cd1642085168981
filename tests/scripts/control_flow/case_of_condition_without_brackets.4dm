// The brackets of a branch condition only group.
$a:=2
Case of
  : $a=1
    ALERT("one")
  : $a=2
    ALERT("two")  // expect: two
End case
