// A member serves in a condition.
$o:=New object
$o.n:=3
If ($o.n=3)
  ALERT("three")  // expect: three
End If
