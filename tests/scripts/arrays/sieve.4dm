// A sieve over an array of Booleans.
ARRAY BOOLEAN($crossed;100)
$count:=0
For ($i;2;100)
  If ($crossed{$i}=False)
    $count:=$count+1
    For ($j;$i+$i;100;$i)
      $crossed{$j}:=True
    End For
  End If
End For
ALERT(String($count))  // expect: 25
