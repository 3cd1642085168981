// Required: an array passed to a method arrives without a value.
ARRAY LONGINT($a;3)
takes_array($a)  // expect: called
