// SPDX-License-Identifier: GPL-3.0-or-later

// What the pages share: the scene, the picture of a spark, and the measurement. A page draws in play()'s callback,
// which is called once in each animation frame; every frame is a sixtieth of a second of the scene, however long it
// takes.

const query = new URLSearchParams(location.search);

export const sparks = Number(query.get("sparks"));
export const width = Number(query.get("width"));
export const height = Number(query.get("height"));
const milliseconds = Number(query.get("seconds")) * 1000;
const wantsPicture = query.has("picture");

export const side = 12; // pixels
export const lifetime = 2; // seconds
export const fastest = 20; // pixels per second in each direction
export const gravity = 10; // pixels per second squared, downwards
export const frameStep = 1 / 60;

const warmUpMilliseconds = 1500;
const fewestFrames = 10;

/** Calls back for each pixel of the glow with its light, 0 to 1. */
function forGlow(call) {
    for (let y = 0; y < side; ++y) {
        for (let x = 0; x < side; ++x) {
            const r = Math.hypot(x + 0.5 - side / 2, y + 0.5 - side / 2) / (side / 2);
            call(y * side + x, r < 1 ? Math.exp(-6 * r * r) * (1 - r * r) : 0);
        }
    }
}

/** A canvas with the glow in that colour, its light as alpha. */
export function glow([red, green, blue]) {
    const canvas = document.createElement("canvas");
    canvas.width = canvas.height = side;
    const context = canvas.getContext("2d");
    const image = context.createImageData(side, side);
    forGlow((pixel, light) => image.data.set([red, green, blue, Math.round(255 * light)], 4 * pixel));
    context.putImageData(image, 0, 0);
    return canvas;
}

/** Sixteen colours, each part 0 to 255 and from dark to full. */
export const colors = Array.from({ length: 16 }, (_, i) => [1, 5, 11].map((step) => ((i * step + 3) % 16) * 17));

/** Sparks that fly, fall a little, fade, and are born again at their end. */
export class Scene {
    constructor() {
        this.x = new Float32Array(sparks);
        this.y = new Float32Array(sparks);
        this.velocityX = new Float32Array(sparks);
        this.velocityY = new Float32Array(sparks);
        this.age = new Float32Array(sparks);
        for (let i = 0; i < sparks; ++i) {
            this.bear(i);
            this.age[i] = Math.random() * lifetime;
        }
    }

    bear(i) {
        this.x[i] = Math.random() * width;
        this.y[i] = Math.random() * height;
        this.velocityX[i] = (2 * Math.random() - 1) * fastest;
        this.velocityY[i] = (2 * Math.random() - 1) * fastest;
        this.age[i] = 0;
    }

    advance() {
        for (let i = 0; i < sparks; ++i) {
            this.age[i] += frameStep;
            if (this.age[i] >= lifetime) {
                this.bear(i);
            }
            this.velocityY[i] += gravity * frameStep;
            this.x[i] += this.velocityX[i] * frameStep;
            this.y[i] += this.velocityY[i] * frameStep;
        }
    }

    light(i) {
        return 1 - this.age[i] / lifetime;
    }
}

export function report(path, body) {
    return fetch(path, { method: "POST", body });
}

async function sendPicture(canvas, measured) {
    const copy = document.createElement("canvas");
    copy.width = width;
    copy.height = height;
    const context = copy.getContext("2d");
    context.fillRect(0, 0, width, height);
    context.drawImage(canvas, 0, 0);
    await measured;
    report("/picture", context.getImageData(0, 0, width, height).data);
}

/**
 * Draws frame after frame and tells the server the number of frames at the beginning and at the end of the measured
 * time, upon which it looks at the processor time.
 */
export function play(canvas, drawFrame) {
    if (canvas.width !== width || canvas.height !== height || innerWidth < width || innerHeight < height) {
        throw new Error(`${canvas.width}x${canvas.height} pixels in a page of ${innerWidth}x${innerHeight}`);
    }
    let frames = 0;
    let measured = false;
    let next = performance.now() + warmUpMilliseconds;
    let framesAtLeast = 3;
    const frame = (now) => {
        drawFrame();
        ++frames;
        if (frames >= framesAtLeast && now >= next) {
            const told = report("/mark", String(frames));
            if (measured) {
                if (wantsPicture) {
                    sendPicture(canvas, told);
                }
                return;
            }
            measured = true;
            framesAtLeast = frames + fewestFrames;
            next = now + milliseconds;
        }
        requestAnimationFrame(frame);
    };
    requestAnimationFrame(frame);
}

/** A canvas that fills the page. */
export function makeCanvas() {
    const canvas = document.createElement("canvas");
    canvas.width = width;
    canvas.height = height;
    document.body.append(canvas);
    return canvas;
}

addEventListener("error", (event) => report("/error", event.message));
addEventListener("unhandledrejection", (event) => report("/error", String(event.reason)));
