// A command without brackets whose value is of another kind leaves the value alone.
ALERT(String(5+Temporary folder))  // expect: 5
ALERT(Choose((7+True)=7;"kept";"changed"))  // expect: kept
