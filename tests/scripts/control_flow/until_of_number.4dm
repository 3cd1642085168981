// The condition of an Until must be a Boolean.
Repeat
Until (1)  // error: -13 Command "" wrong parameter type
