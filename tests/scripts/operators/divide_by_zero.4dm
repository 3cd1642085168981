// Division of a number by zero is an error.
$zero:=0
ALERT("before")  // expect: before
ALERT(String(7/$zero))  // error: -2 Division by zero
ALERT("behind")
