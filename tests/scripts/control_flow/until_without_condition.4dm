// An Until needs a condition.
Repeat
// error next: -29 Wrong Repeat/Until-Statement
Until ()
