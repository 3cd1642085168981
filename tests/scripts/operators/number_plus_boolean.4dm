// A Boolean behind a number does nothing.
$t:=(1=1)
ALERT(String(1+$t))  // expect: 1
ALERT(String(1+(True)))  // expect: 1
ALERT(String(1*$t+4))  // expect: 5
