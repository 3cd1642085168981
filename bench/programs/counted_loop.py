def main():
    total = 0.0
    for i in range(1, 2000001):
        total = total + ((i * 3) % 7) - 1
    print(int(total))


main()
