// A parameter has the kind of its value.
refill_it("text")
