// TRACE and NO TRACE do nothing while tracing is not enabled.
TRACE
NO TRACE
ALERT("end")  // expect: end
