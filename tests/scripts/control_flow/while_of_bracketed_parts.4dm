// The condition of a While may be made of several brackets.
$i:=0
$go:=(1=1)
While ($i<5) & ($go)
  $i:=$i+1
  If ($i=2)
    $go:=(1=2)
  End If
End while
ALERT(String($i))  // expect: 2
