// A local is shown with its prefix.
$x:=$unknown  // error: -14 Unknown Variable "$unknown"
