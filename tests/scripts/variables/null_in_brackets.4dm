// Required: a Null that has gone through brackets is no value.
x:=(Null)  // error: -5 Undefined assignment variable type
