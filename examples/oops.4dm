// What an error looks like: the line, the words, and the chain of calls.
ALERT("So far so good.")
$average:=Average of nothing("apples")
