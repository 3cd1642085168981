// Calls a method that fails.
ALERT("inside")
fails_deeper($1)
ALERT("never")
