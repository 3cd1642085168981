def main():
    composite = [False] * 200001
    count = 0
    for i in range(2, 200001):
        if not composite[i]:
            count = count + 1
            k = i * i
            while k <= 200000:
                composite[k] = True
                k = k + i
    print(count)


main()
