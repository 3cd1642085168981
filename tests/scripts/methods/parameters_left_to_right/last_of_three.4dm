// Prints its third parameter.
ALERT("called with "+$3)
