// Sets no result.
$local:=$1
