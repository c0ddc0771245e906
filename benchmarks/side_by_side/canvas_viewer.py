#!/usr/bin/python3
"""A minimal alternative to Tarnwick: a canvas that shows the points 20 times a second.

canvas_viewer.py SERIAL_DEVICE
"""

import sys
import threading
import tkinter

import serial

WIDTH, HEIGHT, RADIUS = 600, 450, 8
points = [(0, 0)] * 4


def read(port):
    global points
    while True:
        fields = port.readline().decode(errors="ignore").strip().split(",")
        try:
            values = [int(field) for field in fields]
        except ValueError:
            continue
        if len(values) == 8:
            points = list(zip(values[::2], values[1::2]))


def main():
    port = serial.Serial(sys.argv[1], 38400, timeout=1)
    threading.Thread(target=read, args=(port,), daemon=True).start()
    window = tkinter.Tk()
    window.title("canvas viewer")
    canvas = tkinter.Canvas(window, width=WIDTH, height=HEIGHT, bg="black")
    canvas.pack()
    marks = [canvas.create_oval(0, 0, 0, 0, outline=color) for color in ("red", "green", "blue", "yellow")]
    label = tkinter.Label(window)
    label.pack()

    def show():
        for mark, (x, y) in zip(marks, points):
            x, y = x * WIDTH / 1024, y * HEIGHT / 768
            canvas.coords(mark, x - RADIUS, y - RADIUS, x + RADIUS, y + RADIUS)
        label["text"] = str(points)
        window.after(50, show)

    show()
    window.mainloop()


if __name__ == "__main__":
    main()
