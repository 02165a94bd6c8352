// SPDX-License-Identifier: GPL-3.0-or-later

// The scene by the browser's own canvas: a ready tinted glow drawn for each spark.

import { Scene, colors, glow, height, makeCanvas, play, side, sparks, width } from "/web/scene.js";

const scene = new Scene();
const glows = colors.map(glow);
const canvas = makeCanvas();
const context = canvas.getContext("2d", { alpha: false });

play(canvas, () => {
    scene.advance();
    context.globalCompositeOperation = "copy";
    context.globalAlpha = 1;
    context.fillStyle = "black";
    context.fillRect(0, 0, width, height);
    context.globalCompositeOperation = "lighter";
    for (let i = 0; i < sparks; ++i) {
        context.globalAlpha = scene.light(i);
        context.drawImage(glows[i % glows.length], scene.x[i] - side / 2, scene.y[i] - side / 2);
    }
});
