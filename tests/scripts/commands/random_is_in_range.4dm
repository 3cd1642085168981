// Random gives a number from 0 to 32767.
$good:=0
For ($i;1;20)
  $n:=Random
  If ($n>=0) & ($n<=32767)
    $good:=$good+1
  End If
End For
ALERT(String($good))  // expect: 20
