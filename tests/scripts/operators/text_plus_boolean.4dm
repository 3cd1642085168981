// A Boolean behind a text does nothing, and a text behind a Boolean neither.
$t:=(1=1)
ALERT("a"+$t)  // expect: a
ALERT(Choose($t+"a";"yes";"no"))  // expect: yes
