// A declared result that is not set is an empty value.
ALERT(String(declares_result(1)))  // expect: 0
