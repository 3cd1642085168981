// An object variable takes no collection.
vo:=New object
vo:=New collection  // error: -10 Variable "vo" has incorrect type!
