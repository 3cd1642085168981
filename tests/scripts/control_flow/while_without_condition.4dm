// A While needs a condition.
// error next: -28 Wrong While-Statement
While ()
End while
