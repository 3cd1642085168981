// A semaphore that nobody holds is taken.
$held:=Semaphore("zr golden script")
ALERT(Choose($held;"held";"taken"))  // expect: taken
CLEAR SEMAPHORE("zr golden script")
