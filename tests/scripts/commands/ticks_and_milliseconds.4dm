// Tickcount and Milliseconds give numbers.
$t:=Tickcount
$m:=Milliseconds
ALERT(Choose(($t>=0) | ($t<0);"number";"none"))  // expect: number
ALERT(Choose(($m>=0) | ($m<0);"number";"none"))  // expect: number
