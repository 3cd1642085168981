// Average of nothing (what) -> an error.
$count:=0
$0:=100/$count
