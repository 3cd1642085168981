// Changes its own parameters.
$1:=$1+1
$2:=$2+"d"
