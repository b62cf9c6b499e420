// The pictures that stand for the symbol names, drawn on a grid of 24 by 24 with lines of one width. `stroke` is a path
// to be drawn, `fill` one to be filled: what lies inside two of its outlines is left out, and so is a sign on a disc.
.pragma library

function circle(x, y, radius) {
    return `M${x} ${y - radius}a${radius} ${radius} 0 1 0 0 ${2 * radius}a${radius} ${radius} 0 1 0 0 ${-2 * radius}z`
}

// Eight teeth around a hole.
function gear() {
    const teeth = 8, outer = 9.4, inner = 7.2
    let path = ""
    for (let tooth = 0; tooth < teeth; ++tooth)
        for (const [offset, radius] of [[-0.30, inner], [-0.19, outer], [0.19, outer], [0.30, inner]]) {
            const angle = (tooth + offset) / teeth * 2 * Math.PI
            path += `${path === "" ? "M" : "L"}${(12 + radius * Math.sin(angle)).toFixed(2)} `
                    + `${(12 - radius * Math.cos(angle)).toFixed(2)}`
        }
    return path + "z" + circle(12, 12, 3)
}

const ring = circle(12, 12, 9)
const disc = circle(12, 12, 9.6)
const octagon = "M8.3 3h7.4L21 8.3v7.4L15.7 21H8.3L3 15.7V8.3z"
const shield = "M12 2.8l7.5 2.7v5.8c0 4.6-3 8-7.5 9.9-4.5-1.9-7.5-5.3-7.5-9.9V5.5z"

const table = {
    "apple.terminal": {stroke: "M5 4h14a2 2 0 0 1 2 2v12a2 2 0 0 1-2 2H5a2 2 0 0 1-2-2V6a2 2 0 0 1 2-2z"
                               + "M7 9l3 3-3 3M12.5 15H17"},
    "applescript": {stroke: "M6 16V6a2.5 2.5 0 0 1 2.5-2.5h9.5a2.5 2.5 0 0 1 2.5 2.5v2.5h-5"
                            + "M15.5 18V6a2.5 2.5 0 0 1 2.5-2.5M15.5 18a2.5 2.5 0 0 1-5 0v-2h-7v2a2.5 2.5 0 0 0 2.5 2.5h7"
                            + "M9 8h3.2M9 11.8h3.2"},
    "arrow.down.circle.fill": {fill: disc + "M11.1 6.6h1.8v6.8l2.4-2.3 1.2 1.2-4.5 4.5-4.5-4.5 1.2-1.2 2.4 2.3z"},
    "arrow.right": {stroke: "M4 12h16M14 6l6 6-6 6"},
    "arrow.up": {stroke: "M12 19.5V5M6 11l6-6 6 6"},
    "brain": {stroke: "M12 5.6A3 3 0 0 0 6.3 6.3a3.3 3.3 0 0 0-2.2 4.4 3.5 3.5 0 0 0 .7 5.2A3.1 3.1 0 0 0 9 19.4a2.5 2.5 0 0 0 3-1.2z"
                      + "M12 5.6a3 3 0 0 1 5.7.7 3.3 3.3 0 0 1 2.2 4.4 3.5 3.5 0 0 1-.7 5.2 3.1 3.1 0 0 1-4.2 3.5 2.5 2.5 0 0 1-3-1.2"
                      + "M8.8 9.6c.2-1.3 1.2-2 2.2-2M15.2 9.6c-.2-1.3-1.2-2-2.2-2M7.6 14.2c1.3-.6 2.6-.1 3.1 1M16.4 14.2c-1.3-.6-2.6-.1-3.1 1"},
    "character.cursor.ibeam": {stroke: "M2.8 17.5L7 6.5l4.2 11M4.3 13.7h5.4M15 4.5c1.5 0 2.5.6 3 1.6.5-1 1.5-1.6 3-1.6"
                                       + "M15 19.5c1.5 0 2.5-.6 3-1.6.5 1 1.5 1.6 3 1.6M18 6.1v11.8"},
    "checkmark": {stroke: "M5 12.8l4.6 4.6L19 7"},
    "checkmark.circle": {stroke: ring + "M8 12.3l2.8 2.8L16 9.4"},
    "checkmark.circle.fill": {fill: disc + "M6.9 12.4l1.3-1.3 2.6 2.5 5-5.5 1.3 1.2-6.2 6.9z"},
    "checkmark.shield": {stroke: shield + "M8.4 11.8l2.6 2.6 4.6-5"},
    "chevron.down": {stroke: "M6 9l6 6 6-6"},
    "chevron.left.chevron.left.dotted": {stroke: "M10.5 6l-6 6 6 6",
                                         fill: circle(19.5, 6, 1.1) + circle(16.5, 9, 1.1) + circle(13.5, 12, 1.1)
                                               + circle(16.5, 15, 1.1) + circle(19.5, 18, 1.1)},
    "chevron.up.chevron.down": {stroke: "M8 9.5l4-4 4 4M8 14.5l4 4 4-4"},
    "clock": {stroke: ring + "M12 6.8V12l3.4 2.2"},
    "delete.left": {stroke: "M9.2 5H19a2 2 0 0 1 2 2v10a2 2 0 0 1-2 2H9.2L3 12zM12 9.5l5 5M17 9.5l-5 5"},
    "doc": {stroke: "M7 3h6.5L19 8.5V19a2 2 0 0 1-2 2H7a2 2 0 0 1-2-2V5a2 2 0 0 1 2-2zM13.5 3v5.5H19"},
    "exclamationmark": {fill: "M10.5 3.4h3l-.6 11h-1.8z" + circle(12, 18.9, 1.6)},
    "exclamationmark.octagon.fill": {stroke: octagon, fill: octagon + "M10.8 7h2.4l-.4 6.4h-1.6z" + circle(12, 16.3, 1.3)},
    "exclamationmark.shield": {stroke: shield + "M12 7.4v5.2", fill: circle(12, 15.8, 1.2)},
    "exclamationmark.triangle": {stroke: "M10.4 4.4L3 17.3A1.8 1.8 0 0 0 4.6 20h14.8a1.8 1.8 0 0 0 1.6-2.7L13.6 4.4a1.85 1.85 0 0 0-3.2 0zM12 9v4.6",
                                 fill: circle(12, 16.6, 1.15)},
    "eye": {stroke: "M2.5 12C5 7.7 8.3 5.5 12 5.5s7 2.2 9.5 6.5c-2.5 4.3-5.8 6.5-9.5 6.5S5 16.3 2.5 12z" + circle(12, 12, 3)},
    "folder": {stroke: "M3 7V17a2 2 0 0 0 2 2h14a2 2 0 0 0 2-2V9a2 2 0 0 0-2-2h-7L9.9 5.3A1 1 0 0 0 9.2 5H5a2 2 0 0 0-2 2z"},
    "gear": {stroke: gear()},
    "gearshape": {stroke: gear()},
    "hammer.circle": {stroke: ring + "M11.9 11.7l-4.1 4.4M10.6 8.1c1.7-1.3 3.5-1.3 4.9 0l1.7 1.9-2.4 2.3-4.3-4.2z"},
    "hare": {stroke: "M3.4 18.2c-.9-4.3 2-8 6.3-8 2.1 0 3.6.8 4.7 1.8M14.4 12c-2.9-2-5.2-6.1-4.1-7.5 1.2-1.5 5.1 1.8 6.4 6"
                     + "M15.4 7.6c-.4-2.2.1-4.1 1.1-4.2 1.5-.1 2.1 3.3 1.5 6.6M16.7 10.5c2.9 0 4.9 2.2 4.9 3.9 0 1.3-1.1 1.9-2.7 1.9h-1.4"
                     + "M17.5 16.3l-.6 3.9M3.4 18.2c.2 1.3 1.1 2 2.4 2h6.4c-.2-1.6-1.2-2.6-2.9-2.8M12.2 20.2l2.6-4.5",
             fill: circle(18.2, 13.2, 0.95)},
    "house": {stroke: "M3.2 11.6L12 4l8.8 7.6M5.8 9.6V19a1 1 0 0 0 1 1h10.4a1 1 0 0 0 1-1V9.6M10 20v-5.4h4V20"},
    "icloud.and.arrow.down": {stroke: "M7.3 17.5H7a4 4 0 0 1-.6-7.95 5.6 5.6 0 0 1 10.8-1 4.5 4.5 0 0 1-.2 8.95h-.3M12 11.5v9M9 17.7l3 3 3-3"},
    "info.circle": {stroke: ring + "M12 11.2v5.2", fill: circle(12, 7.8, 1.15)},
    "list.clipboard": {stroke: "M8.7 4.6H7a2 2 0 0 0-2 2V19a2 2 0 0 0 2 2h10a2 2 0 0 0 2-2V6.6a2 2 0 0 0-2-2h-1.7"
                               + "M9.5 3h5a.8.8 0 0 1 .8.8v1.6a.8.8 0 0 1-.8.8h-5a.8.8 0 0 1-.8-.8V3.8a.8.8 0 0 1 .8-.8zM12 11h3.6M12 15.5h3.6",
                       fill: circle(8.9, 11, 1) + circle(8.9, 15.5, 1)},
    "minus": {stroke: "M5 12h14"},
    "network": {stroke: ring + "M3 12h18M12 3c-4.6 5.3-4.6 12.7 0 18M12 3c4.6 5.3 4.6 12.7 0 18"},
    "pencil": {stroke: "M4 20l1-4.6L16.1 4.3a1.8 1.8 0 0 1 2.5 0l1.1 1.1a1.8 1.8 0 0 1 0 2.5L8.6 19zM13.9 6.5l3.6 3.6"},
    "play": {stroke: "M7 5v14a.8.8 0 0 0 1.2.7l11.4-7a.8.8 0 0 0 0-1.4l-11.4-7A.8.8 0 0 0 7 5z"},
    "plus": {stroke: "M12 5v14M5 12h14"},
    "power": {stroke: "M12 3v8.5M7.2 6.2a8 8 0 1 0 9.6 0"},
    "printer": {stroke: "M7 8.5v-5h10v5M7 17H5a2 2 0 0 1-2-2v-4.5a2 2 0 0 1 2-2h14a2 2 0 0 1 2 2V15a2 2 0 0 1-2 2h-2M7 13.7h10v6.8H7z",
                fill: circle(17.6, 11.2, 1)},
    "questionmark.circle": {stroke: ring + "M9.5 9.5a2.6 2.6 0 1 1 3.8 2.3c-.9.5-1.3 1.1-1.3 2", fill: circle(12, 16.8, 1.15)},
    "shippingbox": {stroke: "M12 2.8l8.5 4.6v9.2L12 21.2l-8.5-4.6V7.4zM3.5 7.4L12 12l8.5-4.6M12 12v9.2M7.7 5.1l8.6 4.7"},
    "text.justify.left": {stroke: "M4 6h16M4 10h16M4 14h16M4 18h10"},
    "trash": {stroke: "M4 6.8h16M9 6.8V5a1.5 1.5 0 0 1 1.5-1.5h3A1.5 1.5 0 0 1 15 5v1.8"
                      + "M6 6.8l.8 12.2a1.7 1.7 0 0 0 1.7 1.6h7a1.7 1.7 0 0 0 1.7-1.6L18 6.8M10 10.8v6M14 10.8v6"},
    "xmark": {stroke: "M6.5 6.5l11 11M17.5 6.5l-11 11"},
    "xmark.circle.fill": {fill: disc + "M12 10.7l3-3L16.3 9l-3 3 3 3-1.3 1.3-3-3-3 3L7.7 15l3-3-3-3L9 7.7z"},
    "xmark.octagon": {stroke: octagon + "M9 9l6 6M15 9l-6 6"}
}

function has(name) {
    return table[name] !== undefined
}

// What a name without a picture shows: a dot.
const unknown = {fill: circle(12, 12, 3)}

function paths(name) {
    return table[name] || unknown
}
