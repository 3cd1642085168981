// A condition may call a method that has a Case of of its own.
Case of
  : (sort_of(5)="small")
    ALERT("small")
  : (sort_of(50)="big")
    ALERT("big")  // expect: big
End case
