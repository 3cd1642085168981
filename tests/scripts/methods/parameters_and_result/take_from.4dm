// The first parameter less the second.
$0:=$1-$2
