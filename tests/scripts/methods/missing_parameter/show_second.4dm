// Reads two parameters.
ALERT($1)
ALERT($2)  // error: -14 Unknown Variable "$2"
