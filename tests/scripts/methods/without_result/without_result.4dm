// A method that does not set $0 gives no value.
ALERT("before")  // expect: before
do_nothing(1)
ALERT("between")  // expect: between
$x:=do_nothing(1)  // error: -5 Undefined assignment variable type
