// Two For loops of one depth do not disturb each other.
$sum:=0
For ($i;1;3)
  $sum:=$sum+$i
End For
For ($i;1;3)
  $sum:=$sum+($i*10)
End For
ALERT(String($sum))  // expect: 66
