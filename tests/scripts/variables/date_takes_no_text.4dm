// There is no conversion from text to date.
C_DATE($d)
$d:="2024-01-01"  // error: -10 Variable "$d" has incorrect type!
