// A date steps through the days of a month.
$d:=!2024-02-01!
$n:=0
While (Month of($d)=2)
  $n:=$n+1
  $d:=$d+1
End while
ALERT(String($n))  // expect: 29
