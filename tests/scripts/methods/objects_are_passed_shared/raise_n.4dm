// Raises a member of its object.
$1.n:=$1.n+1
