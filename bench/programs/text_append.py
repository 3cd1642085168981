def main():
    text = ""
    part = "xy"
    for i in range(1, 1000001):
        text += part + ";"
    print(len(text))


main()
