// Blocks of all kinds nest.
$n:=0
For ($i;1;3)
  $j:=0
  While ($j<2)
    Repeat
      $j:=$j+1
      If ($j=1)
        Case of
          : ($i=2)
            $n:=$n+100
          Else
            $n:=$n+1
        End case
      Else
        $n:=$n+10
      End If
    Until ($j>=2)
  End while
End For
ALERT(String($n))  // expect: 132
