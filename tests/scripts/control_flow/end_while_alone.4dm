// An End while needs its While.
End while  // error: -20 While expected
