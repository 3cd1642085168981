// Fails.
$0:=$missing  // error: -14 Unknown Variable "$missing"
