// Heading (title): a line that sets a part off from the one before.
ALERT("")
ALERT("== "+$1+" "+("="*(40-Length($1))))
