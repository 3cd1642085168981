// Required: a dollar sign alone is a local without a name.
$:=5
ALERT(String($))  // expect: 5
