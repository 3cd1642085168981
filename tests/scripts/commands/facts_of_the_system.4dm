// Facts of the machine are texts.
$s:=Current machine
$s:=Temporary folder
ALERT(Choose(Length($s)>0;"text";"empty"))  // expect: text
