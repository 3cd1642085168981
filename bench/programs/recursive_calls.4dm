// 57,313 calls of a method that calls itself.
ALERT(String(fibonacci(22)))
