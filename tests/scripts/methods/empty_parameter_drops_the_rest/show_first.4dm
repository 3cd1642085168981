// Prints the first parameter.
ALERT($1)  // error: -14 Unknown Variable "$1"
