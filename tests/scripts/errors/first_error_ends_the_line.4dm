// The first error in a line ends it.
$x:=$one+$two  // error: -14 Unknown Variable "$one"
