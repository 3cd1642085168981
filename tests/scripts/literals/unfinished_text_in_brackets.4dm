// A text without its closing quote takes the closing bracket with it.
// error next: -41 Closed Bracket expected
ALERT("abc)
