export { showMeetings as show } from "/meetings.js";

export const title = "Zoom";
export const styleSheet = "/meetings.css";
