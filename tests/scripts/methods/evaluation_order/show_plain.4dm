// Prints and gives back a text.
ALERT("plain")
$0:="plain"
