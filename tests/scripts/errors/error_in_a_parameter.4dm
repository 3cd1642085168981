// An error in a parameter keeps the command from running.
ALERT("never"+$missing)  // error: -14 Unknown Variable "$missing"
