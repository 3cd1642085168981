// A name may hold blanks.
my own variable:=5
$another one:=6
ALERT(String(my own variable))  // expect: 5
ALERT(String($another one+my own variable))  // expect: 11
