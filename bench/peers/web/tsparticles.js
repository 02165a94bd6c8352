// SPDX-License-Identifier: GPL-3.0-or-later

// The scene in tsParticles, which draws on the browser's canvas. Of its parts only those are loaded that the scene
// needs. Its clock is made to advance by a sixtieth of a second in each frame.

import { tsParticles } from "@tsparticles/engine";
import { loadBlendPlugin } from "@tsparticles/plugin-blend";
import { loadLifeUpdater } from "@tsparticles/updater-life";
import { loadMovePlugin } from "@tsparticles/plugin-move";
import { loadOpacityUpdater } from "@tsparticles/updater-opacity";
import { loadPaintUpdater } from "@tsparticles/updater-paint";
import { loadRgbColorPlugin } from "@tsparticles/plugin-rgb-color";
import { loadImageShape } from "@tsparticles/shape-image";
import { loadSizeUpdater } from "@tsparticles/updater-size";
import { colors, fastest, frameStep, glow, gravity, height, lifetime, play, side, sparks, width } from "/web/scene.js";

/** By itself a life begun again lies in a square as wide as the picture, and goes on with the old motion and light. */
class Rebirth {
    init() {}
    isEnabled() {
        return true;
    }
    update() {}
    reset(particle) {
        particle.position.y = Math.random() * height;
        particle.velocity = particle.initialVelocity.copy();
        particle.opacity.value = 1;
        particle.opacity.status = "decreasing";
    }
}

await tsParticles.pluginManager.register(async (engine) => {
    await Promise.all(
        [
            loadBlendPlugin,
            loadLifeUpdater,
            loadMovePlugin,
            loadOpacityUpdater,
            loadPaintUpdater,
            loadRgbColorPlugin,
            loadImageShape,
            loadSizeUpdater,
        ].map((load) => load(engine)),
    );
    engine.pluginManager.addParticleUpdater("rebirth", async () => new Rebirth());
});

const images = colors.map((color, i) => ({ name: `glow ${i}`, src: glow(color).toDataURL() }));

// The engine's own requests for frames are kept for play().
let nextFrame = () => {};
let time = 0;
const { requestAnimationFrame } = window;
function keepFrame(call) {
    nextFrame = call;
    return 0;
}
window.requestAnimationFrame = keepFrame;

const place = document.createElement("div");
place.style.width = `${width}px`;
place.style.height = `${height}px`;
document.body.append(place);

const container = await tsParticles.load({
    element: place,
    options: {
        autoPlay: true,
        background: { color: "#000000" },
        blend: { enable: true, mode: "lighter" },
        detectRetina: false,
        fpsLimit: 120,
        fullScreen: { enable: false },
        pauseOnBlur: false,
        pauseOnOutsideViewport: false,
        preload: images,
        particles: {
            number: { value: sparks },
            life: { count: 0, delay: { value: 0 }, duration: { value: lifetime, sync: true } },
            move: {
                enable: true,
                speed: { min: 0, max: (2 * fastest) / 60 },
                gravity: { enable: true, acceleration: gravity / 60 },
            },
            opacity: {
                value: { min: 0, max: 1 },
                animation: {
                    enable: true,
                    speed: 100 / 60 / lifetime, // percent of a frame
                    startValue: "max",
                    mode: "decrease",
                    sync: true,
                },
            },
            paint: { color: { value: "rgb(255, 255, 255)" }, fill: { enable: false } }, // needs one to draw
            shape: { type: "image", close: false, options: { image: images } },
            size: { value: side / 2 },
        },
    },
});
window.requestAnimationFrame = requestAnimationFrame;
const canvas = container.canvas.render.draw((context) => context.canvas); // an OffscreenCanvas

for (const particle of container.particles.filter(() => true)) {
    const age = Math.random();
    particle.life.time = age * particle.life.duration;
    particle.opacity.value = 1 - age;
}

play(canvas, () => {
    window.requestAnimationFrame = keepFrame;
    time += 1000 * frameStep;
    nextFrame(time);
    window.requestAnimationFrame = requestAnimationFrame;
});
