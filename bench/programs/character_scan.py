def main():
    text = "the quick brown fox jumps over the lazy dog. " * 33000
    count = 0
    for i in range(len(text)):
        if text[i] == "o":
            count = count + 1
    print(count)


main()
