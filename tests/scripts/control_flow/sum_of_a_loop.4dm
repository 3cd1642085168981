// A loop of many passes.
$sum:=0
For ($i;1;10000)
  $sum:=$sum+$i
End For
ALERT(String($sum))  // expect: 50005000
