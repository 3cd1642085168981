// 635,621 calls of a method that calls itself.
ALERT(String(fibonacci(27)))
