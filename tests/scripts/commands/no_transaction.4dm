// No transaction is open at the start.
ALERT(Choose(In transaction;"open";"none"))  // expect: none
