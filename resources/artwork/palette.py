"""The colors of all artwork, as (red, green, blue) in 0..255."""

INK = (38, 48, 62)  # all outlines and dark details
WHITE = (255, 255, 255)
MAGENTA = (255, 0, 255)  # transparent in the toolbar bitmap, not used elsewhere
# In the middle between the classic and the newer gray of a toolbar: edge pixels are blended with it.
BUTTON_FACE = (226, 224, 220)

# Each family: the light color at the top left and the dark color at the bottom right.
FAMILIES = {
    "white": ((255, 255, 255), (224, 231, 239)),
    "steel": ((236, 241, 246), (142, 156, 172)),
    "slate": ((132, 148, 168), (62, 76, 96)),
    "night": ((52, 66, 92), (14, 19, 32)),
    "blue": ((142, 200, 250), (32, 104, 190)),
    "green": ((168, 228, 122), (44, 142, 48)),
    "amber": ((255, 226, 130), (234, 144, 10)),
    "red": ((255, 150, 128), (200, 36, 36)),
    "violet": ((206, 178, 246), (104, 68, 180)),
    "teal": ((144, 228, 222), (14, 134, 142)),
    "brown": ((222, 172, 116), (138, 86, 40)),
}

# The four tracked points: distinguishable in normal vision and in the three kinds of color blindness.
POINTS = ((255, 60, 40), (50, 132, 255), (255, 236, 60), (116, 255, 198))
