// A chain of objects is built and walked.
$first:=New object
$o:=$first
For ($i;1;3)
  $o.value:=$i
  $o.next:=New object
  $o:=$o.next
End For
$o:=$first
$sum:=0
For ($i;1;3)
  $sum:=$sum*10+($o.value)
  $o:=$o.next
End For
ALERT(String($sum))  // expect: 123
